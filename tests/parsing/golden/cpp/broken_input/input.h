// Damaged declarations cost themselves, not the classes around them.
class TFirst
{
    int A
    void __fastcall NoSemicolon()
public
    int B;
    SOME_MACRO
};

}  // a stray brace at file level

class TSecond : public TBase;
class TThird : public
{
    int C;
    int operator
};

class TFourth { int D; int E = 1 < 2; int F; };
class { int G; } Anonymous;
class TFifth { __property int P = {read=FP} };
