unit BrokenParen;

interface

type
  TBroken = class(TObject)
    FOk: Integer;
    procedure Open(A: Integer;
    procedure Lost;
  end;

  TAfter = class
  end;

implementation

end.
