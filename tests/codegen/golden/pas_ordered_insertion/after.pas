unit Ordered;

interface

type
  TList2 = class
  private
    FAlpha: Integer;
        FBeta: Integer;
    FGamma: Integer;
  public
    procedure Add;
        procedure Clear;
    procedure Delete;
  end;

implementation

procedure TList2.Add;
begin
end;

@^procedure TList2.Clear;
begin

end;

procedure TList2.Delete;
begin
end;

end.
