unit Handlers;

interface

type
  TMainForm = class(TForm)
  protected
    procedure Loaded; override;
        procedure WMSize(var Message: TWMSize); message WM_SIZE;
  end;

implementation

procedure TMainForm.Loaded;
begin
  inherited Loaded;
end;

@^procedure TMainForm.WMSize(var Message: TWMSize);
begin

end;

end.
