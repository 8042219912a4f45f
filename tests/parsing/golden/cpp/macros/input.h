#ifndef MacrosH
#define MacrosH
#define DECLARE_CLONE(T) \
    T* Clone() const { return new T(*this); } \
    int CloneCount;
#pragma option push -w-inl
#if 0
class TDisabled { int Seen; };
#else
class TEnabled { int Seen; };
#endif
#pragma option pop

USEFORM("Main.cpp", MainForm);
USEUNIT("Tools.cpp");

class PACKAGE TTool : public TComponent
{
    DECLARE_DYNAMIC(TTool)
    DECLARE_MESSAGE_MAP()
    DYNAMIC void __fastcall Click();
    BEGIN_COM_MAP(TTool)
        COM_INTERFACE_ENTRY(IUnknown)
        COM_INTERFACE_ENTRY_IID(IID_ITool, ITool)
    END_COM_MAP()
    STDMETHOD(Run)(int Mode) PURE;
    STDMETHOD_(ULONG, AddRef)(THIS) PURE;
    DECLARE_CLONE(TTool)
    EXPORT_API int Exported;
public:
    __fastcall TTool(TComponent* Owner);
BEGIN_MESSAGE_MAP
    MESSAGE_HANDLER(WM_PAINT, TMessage, WMPaint)
END_MESSAGE_MAP(TComponent)
};

DEFINE_GUID(IID_ITool, 0x1, 0x2, 0x3);
DECLARE_HANDLE(HTOOL);
#endif
