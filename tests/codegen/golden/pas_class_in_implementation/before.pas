unit Hidden;

interface

procedure Start;

implementation

type
  THelper = class
  private
    FCount: Integer;
  end;

procedure Start;
begin
end;

end.
