class PACKAGE TGauge : public TGraphicControl
{
private:
    int FMin, FMax, FPosition;
    TColor FForeColor;
    TNotifyEvent FOnChange;
    int __fastcall GetPercent();
    void __fastcall SetPosition(int Value);
    int __fastcall GetMark(int Index);
    void __fastcall SetMark(int Index, int Value);
    bool __fastcall IsColorStored();
public:
    __fastcall TGauge(TComponent* Owner);
    __property int Percent = {read=GetPercent};
    __property int Marks[int Index] = {read=GetMark, write=SetMark};
    __property AnsiString Captions[int Row][int Col] = {read=GetCaption};
__published:
    __property int Min = {read=FMin, write=FMin, default=0};
    __property int Max = { read = FMax , write = FMax , default = 100 , nodefault };
    __property int Position = {read=FPosition, write=SetPosition, stored=false};
    __property TColor ForeColor = {read=FForeColor, write=FForeColor, stored=IsColorStored};
    __property int Tagged = {index=3, read=GetMark};
    __property TNotifyEvent OnChange = {read=FOnChange, write=FOnChange};
    __property Align;
    __property /* kept */ Visible /* as well */ ;
    __property TFont
        *Font = {read=GetFont,
                 write=SetFont};
};
