class TPanel2 : public TCustomPanel
{
public:
    __fastcall TPanel2(TComponent *Owner);
};
