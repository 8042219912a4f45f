class TPoint3
{
public:
    int X, Y, Z;
    TButton *OkButton, *CancelButton;
    char Name[32], Code[4], *Note;
    unsigned long Hits, Misses;
    const char* First, Second;
    static int Count;
    double Weights[3][3];
    int Tally = 0, Limit;
};

struct TRange { int Low, High; };

int GlobalA, GlobalB;
void GlobalF(int), GlobalG(char);
