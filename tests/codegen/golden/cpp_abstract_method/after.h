class TShape
{
public:
    virtual ~TShape();
@^    virtual double Area() const = 0;
};
