class TOuter
{
public:
    class TInner
    {
    public:
        int Value;
    };
    TInner Item;
};
