#include <vcl.h>

class TCounter : public TObject
{
public:
    __fastcall TCounter();
    int Count;
};
