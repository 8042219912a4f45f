class TShape : public TObject
{
private:
    int FWidth;
    int FHeight;
@^    TColor FColor;
    void __fastcall Resize(int w, int h);
public:
    __fastcall TShape();
};
