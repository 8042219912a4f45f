unit Dialogs2;

interface

type
  TInputDialog = class(TForm)
  public
    procedure Show;
  end;

implementation

procedure TInputDialog.Show;
begin
end;

end.
