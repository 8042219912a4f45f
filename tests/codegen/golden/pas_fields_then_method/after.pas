unit Shapes;

interface

type
  TShape = class(TObject)
  private
    FWidth: Integer;
        FHeight: Integer;
@^        FColor: TColor;
        procedure Resize(W: Integer; H: Integer);
  public
    constructor Create;
  end;

implementation

constructor TShape.Create;
begin
end;

procedure TShape.Resize(W: Integer; H: Integer);
begin

end;

end.
