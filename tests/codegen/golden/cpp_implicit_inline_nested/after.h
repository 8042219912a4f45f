class TOuter
{
public:
    class TInner
    {
    public:
        int Value;
@^    int Twice() const
    {
        return Value * 2;
    }
    };
    TInner Item;
};
