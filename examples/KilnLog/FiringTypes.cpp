//---------------------------------------------------------------------------
#include <vcl.h>
#pragma hdrstop

#include "FiringTypes.h"
//---------------------------------------------------------------------------
#pragma package(smart_init)
//---------------------------------------------------------------------------
namespace Kiln
{

int TFiring::FNextNumber = 1;

// Orton cones, self supporting, at a final climb of 150 C per hour.
// Cones 06, 04 are written as -6, -4 so that the table sorts by number.
static const int ConeTable[][2] = {
    {-6, 999}, {-4, 1060}, {1, 1137}, {5, 1186}, {6, 1222}, {8, 1249}, {10, 1285}
};
static const int ConeCount = sizeof(ConeTable) / sizeof(ConeTable[0]);

//---------------------------------------------------------------------------
int __fastcall TFiringSegment::MinutesFrom(int StartC) const
{
    if (RatePerHour <= 0)           // "as fast as it will go": count the hold only
        return HoldMinutes;
    return abs(TargetC - StartC) * 60 / RatePerHour + HoldMinutes;
}

//---------------------------------------------------------------------------
TFiring::TFiring(TFiringKind AKind)
    : FNumber(FNextNumber++), FKind(AKind), FStarted(Now()),
      FSegments(new TTypedList<TFiringSegment>), FLoad(new TTypedList<TLoadItem>)
{
}

TFiring::~TFiring()
{
    delete FLoad;
    delete FSegments;
}

void TFiring::AddSegment(int RatePerHour, int TargetC, int HoldMinutes)
{
    FSegments->AddItem(new TFiringSegment(RatePerHour, TargetC, HoldMinutes));
}

void TFiring::AddSegment(const TFiringSegment& Segment)
{
    FSegments->AddItem(new TFiringSegment(Segment));
}

void TFiring::AddLoad(const AnsiString& Description, int Shelf, int Count)
{
    FLoad->AddItem(new TLoadItem(Description, Shelf, Count));
}

int TFiring::PeakTemperature() const
{
    int Peak = STUDIO_ROOM_TEMP_C;
    for (int i = 0; i < FSegments->Count; i++)
        Peak = max(Peak, FSegments->At(i)->TargetC);
    return Peak;
}

int TFiring::TotalMinutes() const
{
    int Minutes = 0, Temp = STUDIO_ROOM_TEMP_C;
    for (int i = 0; i < FSegments->Count; i++)
    {
        TFiringSegment* Seg = FSegments->At(i);
        Minutes += Seg->MinutesFrom(Temp);
        Temp = Seg->TargetC;
    }
    return Minutes;
}

AnsiString TFiring::KindName(TFiringKind AKind)
{
    static const char* Names[] = { "Bisque", "Glaze", "Lustre" };
    return Names[AKind];
}

//---------------------------------------------------------------------------
TElectricCost::TElectricCost(double AKilowatts, double ARatePerKwh)
    : TCostModel(ARatePerKwh), FKilowatts(AKilowatts), FDutyFactor(0.6)
{
}

double TElectricCost::Cost(const TFiring& Firing) const
{
    double Hours = Firing.TotalMinutes() / 60.0;
    return FKilowatts * FDutyFactor * Hours * FRate;
}

AnsiString TElectricCost::Describe()
{
    return FormatFloat("0.0", FKilowatts) + " kW at " + FormatFloat("0.000", FRate) + " per kWh";
}

//---------------------------------------------------------------------------
AnsiString FormatDuration(int Minutes)
{
    return IntToStr(Minutes / 60) + ":" + FormatFloat("00", Minutes % 60);
}

double CelsiusToFahrenheit(double Celsius)
{
    return Celsius * 9.0 / 5.0 + 32.0;
}

int __fastcall ConeToCelsius(int Cone)
{
    for (int i = 0; i < ConeCount; i++)
        if (ConeTable[i][0] >= Cone)
            return ConeTable[i][1];
    return ConeTable[ConeCount - 1][1];
}

} // namespace Kiln
//---------------------------------------------------------------------------
// Same rolling sum as the controller's serial protocol; used to spot log
// files that were edited by hand.
extern "C" int __stdcall StudioChecksum(const char* Data, int Length)
{
    int Sum = 0;
    for (int i = 0; i < Length; i++)
        Sum = (Sum << 1) ^ (unsigned char)Data[i];
    return Sum;
}
//---------------------------------------------------------------------------
