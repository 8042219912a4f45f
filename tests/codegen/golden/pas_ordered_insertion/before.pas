unit Ordered;

interface

type
  TList2 = class
  private
    FAlpha: Integer;
    FGamma: Integer;
  public
    procedure Add;
    procedure Delete;
  end;

implementation

procedure TList2.Add;
begin
end;

procedure TList2.Delete;
begin
end;

end.
