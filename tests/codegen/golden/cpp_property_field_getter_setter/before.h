class TGauge : public TGraphicControl
{
private:
    int FMin;
__published:
    __property int Min = { read = FMin, write = FMin };
};
