// A header in the style of later C++: noexcept and throw() clauses, trailing return types,
// ref-qualifiers, override and final, and friend operators defined in the class.
#pragma once

#include <cstddef>

namespace geo {

class TVector
{
public:
    constexpr TVector() noexcept = default;
    constexpr TVector(double x, double y) noexcept : FX(x), FY(y) {}
    TVector(const TVector &other) noexcept(true) = default;

    double X() const noexcept { return FX; }
    double Y() const & noexcept { return FY; }
    TVector Moved() && noexcept;
    auto Length() const -> double;
    template <typename F> auto Map(F f) const -> decltype(f(0.0));

    friend bool operator==(const TVector &a, const TVector &b) noexcept
    {
        return a.FX == b.FX && a.FY == b.FY;
    }
    friend bool operator!=(const TVector &a, const TVector &b) noexcept { return !(a == b); }
    friend class TVectorPrivate;

    void Swap(TVector &other) throw();

private:
    double FX = 0;
    double FY = 0;
};

class TShape
{
public:
    virtual ~TShape();
    virtual double Area() const = 0;
    virtual void Scale(double Factor) noexcept = 0;
};

class TCircle final : public TShape
{
public:
    explicit TCircle(double Radius) noexcept;
    double Area() const override;
    void Scale(double Factor) noexcept override final;
    friend auto operator<<(std::ostream &S, const TCircle &C) -> std::ostream & { return S; }

private:
    double FRadius;
};

double Distance(const TVector &A, const TVector &B) noexcept;
auto Centre(const TShape &S) -> TVector;
void Reset(TVector &V) noexcept(false);

} // namespace geo
