unit Shapes;

interface

type
  TShape = class
  public
    destructor Destroy; override;
@^        function Area: Double; virtual; abstract;
  end;

implementation

destructor TShape.Destroy;
begin
  inherited Destroy;
end;

end.
