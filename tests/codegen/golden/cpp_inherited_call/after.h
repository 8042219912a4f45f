class TInputDialog : public TForm
{
protected:
    int FCount;
    virtual void __fastcall CreateParams(TCreateParams & Params);
public:
    __fastcall TInputDialog(TComponent *Owner);
};
