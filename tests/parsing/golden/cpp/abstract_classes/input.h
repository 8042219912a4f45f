class TShape
{
public:
    virtual ~TShape() = 0;
    virtual double __fastcall Area() const = 0;
    virtual void __fastcall Draw(TCanvas* Canvas) = 0;
    virtual AnsiString __fastcall Name() const { return "shape"; }
    int Id() const;
protected:
    TShape() : FId(++FNextId) {}
    virtual void __fastcall Changed() {}
private:
    int FId;
    static int FNextId;
};

class TCircle : public TShape
{
    double FRadius;
public:
    TCircle(double ARadius)
        : TShape(), FRadius(ARadius)
    {
        if (FRadius < 0)
            FRadius = -FRadius;
    }
    double __fastcall Area() const;
    void __fastcall Draw(TCanvas* Canvas);
    inline double Radius() const { return FRadius; }
};

struct IVisitor
{
    virtual void __stdcall Visit(TShape* Shape) = 0;
    virtual void __cdecl Done() = 0;
    virtual ULONG __stdcall Release(void) = 0;
};
