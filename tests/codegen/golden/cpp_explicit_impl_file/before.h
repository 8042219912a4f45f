class TParser2
{
public:
    int Parse(const char *Text);
};
