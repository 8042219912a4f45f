unit Handlers;

interface

uses Windows, Messages, Classes, Controls;

type
  TGauge = class(TCustomControl)
  private
    FValue: Integer;
    procedure WMSize(var Message: TWMSize); message WM_SIZE;
    procedure WMEraseBkgnd(var Msg: TWMEraseBkgnd); message WM_ERASEBKGND;
    procedure CMFontChanged(var Msg: TMessage); message CM_BASE + 12;
  protected
    procedure Paint; override;
    procedure Changed; virtual;
    procedure DoDraw; virtual; abstract;
    procedure Notify; dynamic;
    function Calc(A: Integer): Integer; virtual; stdcall;
    function CalcC(A: Integer): Integer; cdecl;
    function CalcP(A: Integer): Integer; pascal;
    function CalcR(A: Integer): Integer; register;
    function CalcS(A: Integer): Integer; safecall;
    procedure Step; overload;
    procedure Step(Count: Integer); overload;
  public
    class function Instances: Integer;
    class procedure Reset; virtual;
    class function CreateDefault(AOwner: TComponent): TGauge;
    constructor Create(AOwner: TComponent); override;
    destructor Destroy; override;
  end;

procedure Register;

implementation

procedure Register;
begin
end;

end.
