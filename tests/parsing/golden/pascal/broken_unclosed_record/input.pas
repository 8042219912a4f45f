unit BrokenRecord;

interface

type
  TBefore = class
    FA: Integer;
  end;

  TBroken = class
    FData: record
      X: Integer;
    procedure Lost;
  end;

  TAfter = class
    FB: Integer;
  end;

procedure Kept;

implementation

end.
