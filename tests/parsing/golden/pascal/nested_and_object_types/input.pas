unit NestedTypes;

interface

type
  TOuter = class(TObject)
  public type
    TKind = (kA, kB);
    TInner = class
      FX: Integer;
      procedure Run;
    end;
    TPoint = record
      X, Y: Integer;
    end;
  private const
    CMax = 10;
    CNames: array[0..1] of string = ('a', 'b');
  public
    FInner: TInner;
    procedure Go;
  end;

  TShape = object
    FArea: Double;
    procedure Draw; virtual;
  end;

  THelper = class helper for TOuter
    function Twice: Integer;
  end;

  TProcRef = procedure of object;

procedure Kept;

implementation

end.
