#include "before.h"

int TGauge::GetMax()
{
    return FMax;
}

@^void TGauge::SetMax(int value)
{
    FMax = value;
}

//Marker(Insert_End)
