unit Plain;

interface

type
  TWorker = class
  public
    procedure Run;
        procedure Stop;
  end;

implementation

procedure TWorker.Run;
begin
end;

@^procedure TWorker.Stop;
begin

end;

end.
