class TMainForm : public TForm
{
__published:
    TButton *OkButton;
protected:
    void __fastcall WMSize(TWMSize &Message);
    void __fastcall WMPaint(TWMPaint & Message);
    BEGIN_MESSAGE_MAP
        VCL_MESSAGE_HANDLER(WM_SIZE, TWMSize, WMSize)
        VCL_MESSAGE_HANDLER(WM_PAINT, TWMPaint, WMPaint)
    END_MESSAGE_MAP(TForm)
public:
    __fastcall TMainForm(TComponent *Owner);
};
