//---------------------------------------------------------------------------
// FiringTypes.h - the firing log's data: schedules, kiln loads and costing.
// No forms in here, so the unit can be reused by the controller logger.
//---------------------------------------------------------------------------
#ifndef FiringTypesH
#define FiringTypesH
//---------------------------------------------------------------------------
#include <Classes.hpp>
#include "StudioDefs.h"
//---------------------------------------------------------------------------
namespace Kiln
{

// One step of a firing schedule: climb (or cool) at RatePerHour degrees
// per hour until TargetC is reached, then hold for HoldMinutes.
struct TFiringSegment
{
    int RatePerHour;
    int TargetC;
    int HoldMinutes;

    TFiringSegment() : RatePerHour(0), TargetC(0), HoldMinutes(0) {}
    TFiringSegment(int ARate, int ATarget, int AHold = 0)
        : RatePerHour(ARate), TargetC(ATarget), HoldMinutes(AHold) {}
    int __fastcall MinutesFrom(int StartC) const;
};

//---------------------------------------------------------------------------
// A TList that knows its item type.  With OwnsItems set it deletes the
// items when they are removed by Purge or when the list goes away.
template <class T>
class TTypedList : public TList
{
private:
    bool FOwnsItems;
protected:
    T* __fastcall GetItem(int Index) { return static_cast<T*>(Items[Index]); }
public:
    __fastcall TTypedList(bool AOwnsItems = true)
        : TList(), FOwnsItems(AOwnsItems) {}
    virtual __fastcall ~TTypedList() { Purge(); }

    int __fastcall AddItem(T* Item) { return Add(Item); }
    T* __fastcall At(int Index) { return GetItem(Index); }
    void __fastcall Purge()
    {
        if (FOwnsItems)
            for (int i = Count - 1; i >= 0; i--)
                delete GetItem(i);
        Clear();
    }

    __property T* Typed[int Index] = {read=GetItem};
    __property bool OwnsItems = {read=FOwnsItems, write=FOwnsItems, default=true};
};

//---------------------------------------------------------------------------
class TFiring
{
public:
    enum TFiringKind { fkBisque, fkGlaze, fkLustre };

    // What went into the kiln: one line per shelf and kind of ware.
    class TLoadItem
    {
    public:
        AnsiString Description;
        int Shelf, Count;
        TLoadItem(const AnsiString& ADescription, int AShelf, int ACount)
            : Description(ADescription), Shelf(AShelf), Count(ACount) {}
    };

private:
    int FNumber;
    TFiringKind FKind;
    TDateTime FStarted;
    TTypedList<TFiringSegment>* FSegments;
    TTypedList<TLoadItem>* FLoad;
    static int FNextNumber;

public:
    TFiring(TFiringKind AKind);
    ~TFiring();

    // Both forms are used: the schedule grid builds segments field by
    // field, presets copy whole segments.
    void AddSegment(int RatePerHour, int TargetC, int HoldMinutes = 0);
    void AddSegment(const TFiringSegment& Segment);
    void ClearSegments() { FSegments->Purge(); }
    void AddLoad(const AnsiString& Description, int Shelf, int Count = 1);

    int PeakTemperature() const;
    int TotalMinutes() const;
    int SegmentCount() const { return FSegments->Count; }
    TFiringSegment* Segment(int Index) const { return FSegments->At(Index); }
    int LoadCount() const { return FLoad->Count; }
    int Number() const { return FNumber; }
    TFiringKind Kind() const { return FKind; }
    TDateTime Started() const { return FStarted; }

    static AnsiString KindName(TFiringKind AKind);
    static int NextNumber() { return FNextNumber; }
    bool operator<(const TFiring& Other) const { return FNumber < Other.FNumber; }
};

//---------------------------------------------------------------------------
// How much a firing costs.  The studio bills members per firing, and the
// gas kiln will need a model of its own one day.
class TCostModel
{
protected:
    double FRate;
public:
    TCostModel(double ARate) : FRate(ARate) {}
    virtual ~TCostModel() {}
    virtual double Cost(const TFiring& Firing) const = 0;
    virtual AnsiString Describe() = 0;
};

class TElectricCost : public TCostModel
{
private:
    double FKilowatts;
    double FDutyFactor;     // average share of the time the elements are on
public:
    TElectricCost(double AKilowatts, double ARatePerKwh);
    virtual double Cost(const TFiring& Firing) const;
    virtual AnsiString Describe();
};

//---------------------------------------------------------------------------
AnsiString FormatDuration(int Minutes);
double CelsiusToFahrenheit(double Celsius);
int __fastcall ConeToCelsius(int Cone);
inline bool IsHighFire(int Cone) { return Cone >= 8; }

} // namespace Kiln
//---------------------------------------------------------------------------
#endif
