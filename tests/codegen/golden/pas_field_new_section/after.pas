unit Counter;

interface

type
  TCounter = class(TObject)
  public
    Count: Integer;
      private
@^        FLimit: Integer;
  end;

implementation

end.
