unit Plain;

interface

type
  TWorker = class
  public
    procedure Run;
  end;

implementation

procedure TWorker.Run;
begin
end;

end.
