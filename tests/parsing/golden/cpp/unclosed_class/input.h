// The last class has no closing brace, and a comment is left open: the class
// ends at the end of the text.
class TComplete { int A; };

class TOpen : public TComplete
{
public:
    int B;
    void __fastcall Run(int Count);
    /* an unclosed comment
    int NotAField;
