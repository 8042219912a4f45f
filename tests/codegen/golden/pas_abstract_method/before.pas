unit Shapes;

interface

type
  TShape = class
  public
    destructor Destroy; override;
  end;

implementation

destructor TShape.Destroy;
begin
  inherited Destroy;
end;

end.
