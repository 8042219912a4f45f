class TInputDialog : public TForm
{
protected:
    int FCount;
public:
    __fastcall TInputDialog(TComponent *Owner);
};
