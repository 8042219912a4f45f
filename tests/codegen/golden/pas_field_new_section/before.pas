unit Counter;

interface

type
  TCounter = class(TObject)
  public
    Count: Integer;
  end;

implementation

end.
