// Classes nested two deep; each body keeps its own visibility.
class TOuter : public TObject
{
public:
    class TMiddle
    {
        int FHidden;
    public:
        class TInner : public TMiddleBase
        {
            int FDepth;
        public:
            TInner();
            int __fastcall Depth() const { return FDepth; }
        } FFirst, *FRest;
        struct TPod { int X, Y; };
        TInner* FInner;
        TMiddle();
    };
    struct TNode
    {
        TNode* Next;
    private:
        int FTag;
    };
    TMiddle FMiddle;
private:
    int FAfter;
    void __fastcall Walk(TNode* Start);
};

struct TPlain { class TInPlain {}; int Value; };
