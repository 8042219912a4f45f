// Template heads: the text between the brackets is kept with the class; a struct
// after a template head stays a struct; specializations refill the record of the
// plain name.
template <class T>
class TBox : public TObject
{
    T FValue;
public:
    TBox(const T& AValue) : FValue(AValue) {}
    T __fastcall Get() const { return FValue; }
    template <class U> U __fastcall As() const;
};

template <class K, class V = TList<TPair<K, V>>, int Size = (4 > 2)>
class TTable : public TCollection<TPair<K, V> >
{
    TList<TPair<K, V>> *FItems;
    V FDefault;
public:
    V& operator[](const K& Key);
};

template <class T> struct TTraits { static const bool IsPointer = false; T Zero; };

template <>
class TBox<bool>
{
    bool FFlag;
};

template <class T> T __fastcall Max(T A, T B);
template class TBox<int>;
