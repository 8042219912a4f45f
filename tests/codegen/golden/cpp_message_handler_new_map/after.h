class TMainForm : public TForm
{
__published:
    TButton *OkButton;
protected:
    BEGIN_MESSAGE_MAP
        VCL_MESSAGE_HANDLER(WM_GETMINMAXINFO, TWMGetMinMaxInfo, WMGetMinMaxInfo)
    END_MESSAGE_MAP(TForm)
    void __fastcall Loaded();
    void __fastcall WMGetMinMaxInfo(TWMGetMinMaxInfo & Message);
public:
    __fastcall TMainForm(TComponent *Owner);
};
