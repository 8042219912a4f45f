unit Shapes;

interface

type
  IShape = interface(IUnknown)
    ['{6A3E4F10-2B7C-11D2-9B1A-00A0C9123456}']
    function GetArea: Double; stdcall;
    procedure Draw(Canvas: TCanvas); safecall;
    property Area: Double read GetArea;
  end;

  IMovable = interface
    ['{6A3E4F11-2B7C-11D2-9B1A-00A0C9123456}']
    procedure MoveBy(DX, DY: Integer);
  end;

  IShapeDisp = dispinterface
    ['{6A3E4F12-2B7C-11D2-9B1A-00A0C9123456}']
    function GetArea: Double; dispid 1;
    property Name: WideString dispid 2;
  end;

  TCircle = class(TInterfacedObject, IShape, IMovable)
  private
    FRadius: Double;
    procedure IMovable.MoveBy = MoveCircle;
    procedure MoveCircle(DX, DY: Integer);
  protected
    function GetArea: Double; stdcall;
    procedure Draw(Canvas: TCanvas); safecall;
  end;

  TShapeHolder = class(TComponent, IShape)
  private
    FShape: IShape;
  public
    property Shape: IShape read FShape implements IShape;
  end;

implementation

end.
