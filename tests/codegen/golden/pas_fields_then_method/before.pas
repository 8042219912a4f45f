unit Shapes;

interface

type
  TShape = class(TObject)
  private
    FWidth: Integer;
  public
    constructor Create;
  end;

implementation

constructor TShape.Create;
begin
end;

end.
