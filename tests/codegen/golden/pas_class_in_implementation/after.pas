unit Hidden;

interface

procedure Start;

implementation

type
  THelper = class
  private
    FCount: Integer;
        function Count: Integer;
  end;

procedure Start;
begin
end;

@^function THelper.Count: Integer;
begin

end;

end.
