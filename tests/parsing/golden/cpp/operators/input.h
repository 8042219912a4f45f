class TMoney
{
    __int64 FCents;
public:
    TMoney();
    TMoney(const TMoney& Other);
    ~TMoney();
    TMoney& operator=(const TMoney& Other);
    TMoney& operator +=(const TMoney& Other);
    TMoney operator+(const TMoney& Other) const;
    TMoney operator - () const;
    bool operator==(const TMoney& Other) const;
    bool operator<(const TMoney& Other) const { return FCents < Other.FCents; }
    int operator[](int Index) const;
    TMoney& operator()(int Cents, int Units = 0);
    operator double() const;
    operator AnsiString*();
    void* operator new(size_t Size);
    void operator delete[](void* P);
    TMoney& operator++();
    TMoney operator++(int);
};

TMoney operator*(const TMoney& M, int Factor);
bool operator!=(const TMoney& A, const TMoney& B);
ostream& operator<<(ostream& S, const TMoney& M);
