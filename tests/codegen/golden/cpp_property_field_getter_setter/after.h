class TGauge : public TGraphicControl
{
private:
    int FMin;
    int FMax;
    int GetMax();
    void SetMax(int value);
__published:
    __property int Min = { read = FMin, write = FMin };
    __property int Max = { read = GetMax, write = SetMax };
};
