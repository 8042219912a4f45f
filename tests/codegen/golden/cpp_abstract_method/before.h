class TShape
{
public:
    virtual ~TShape();
};
