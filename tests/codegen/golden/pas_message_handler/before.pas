unit Handlers;

interface

type
  TMainForm = class(TForm)
  protected
    procedure Loaded; override;
  end;

implementation

procedure TMainForm.Loaded;
begin
  inherited Loaded;
end;

end.
