class TPanel2 : public TCustomPanel
{
public:
    __fastcall TPanel2(TComponent *Owner);
private:
    int FBorder;
protected:
@^    TColor FColor;
    virtual void __fastcall Paint() = 0;
};
