//---------------------------------------------------------------------------
// StudioDefs.h - limits and plain data shared by the studio's small tools.
// Lives outside the project folder; projects reach it through their include
// path (..\common), so keep it free of VCL headers.
//---------------------------------------------------------------------------
#ifndef StudioDefsH
#define StudioDefsH

#define STUDIO_MAX_KILNS      4
#define STUDIO_DEFAULT_CONE   6
#define STUDIO_ROOM_TEMP_C    20

enum TConeRange { crLow, crMid, crHigh };

/* Name plate data of one kiln.  Kept as a C struct because the same header
   is read by the old DOS controller logger. */
typedef struct tagKilnSpec
{
    char   Name[32];
    int    MaxTempC;
    double Kilowatts;
} TKilnSpec;

extern "C"
{
    int __stdcall StudioChecksum(const char* Data, int Length);
}

#endif
