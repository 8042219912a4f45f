namespace Studio
{
    class TKiln { int FTemp; };
    namespace Detail
    {
        struct TRamp { int Rate; };
        int __fastcall Clamp(int Value, int Low, int High);
    }
}

namespace
{
    class THidden { };
}

namespace Alias = Studio::Detail;
using namespace Studio;
using Studio::TKiln;

extern "C"
{
    int __stdcall KilnOpen(const char* Port);
    void __stdcall KilnClose(int Handle);
    typedef struct tagKILNINFO { int Size; } KILNINFO;
}

extern "C" int __cdecl KilnVersion(void);
extern "C++" { class TAfterExtern { public: int Ok; }; }
extern int KilnCount;
extern void __fastcall KilnReset();
class TLast {};
