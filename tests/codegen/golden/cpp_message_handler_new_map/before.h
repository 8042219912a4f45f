class TMainForm : public TForm
{
__published:
    TButton *OkButton;
protected:
    void __fastcall Loaded();
public:
    __fastcall TMainForm(TComponent *Owner);
};
