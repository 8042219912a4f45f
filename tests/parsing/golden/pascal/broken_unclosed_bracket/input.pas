unit BrokenBracket;

interface

type
  TBefore = class
    FOk: Integer;
  end;

  TBroken = class
    FOk: Integer;
    property Items[Index: Integer: string read GetItem;
    procedure Lost;
  end;

  IAfter = interface
    ['{11111111-2222-3333-4444-555555555555}']
  end;

implementation

end.
