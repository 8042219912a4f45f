class TShape : public TObject
{
private:
    int FWidth;
public:
    __fastcall TShape();
};
