unit Lower;

interface

type
  TVisible = class
    procedure Show;
  end;

procedure Exported(X: Integer);
function Answer: Integer;

implementation

type
  THidden = class(TVisible)
    procedure Hide;
  end;

procedure Internal;
begin
end;

procedure Exported(X: Integer);
begin
end;

function Answer: Integer;
begin
  Result := 42;
end;

procedure TVisible.Show;
begin
end;

procedure THidden.Hide;
begin
end;

end.
