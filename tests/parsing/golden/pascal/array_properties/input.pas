unit Lists;

interface

type
  TNamedList = class(TObject)
  private
    FItems: TStringList;
    FTag: Longint;
    function GetItem(Index: Integer): string;
    procedure SetItem(Index: Integer; const Value: string);
    function GetValue(const Name: string): string;
    function GetCell(ACol, ARow: Integer): Double;
    function GetCoord(Index: Integer): Integer;
    procedure SetCoord(Index: Integer; Value: Integer);
  public
    property Items[Index: Integer]: string read GetItem write SetItem; default;
    property Values[const Name: string]: string read GetValue;
    property Cells[ACol, ARow: Integer]: Double read GetCell;
  published
    property Left: Integer index 0 read GetCoord write SetCoord stored False default -1;
    property Top: Integer index 1 read GetCoord write SetCoord default 0;
    property Tag: Longint read FTag write FTag nodefault;
  end;

implementation

end.
