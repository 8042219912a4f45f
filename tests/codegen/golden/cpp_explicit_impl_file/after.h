class TParser2
{
public:
    int Parse(const char *Text);
    bool Reset(int Level = 0);
};
