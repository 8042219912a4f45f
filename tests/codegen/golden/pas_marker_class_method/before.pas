unit Marked;

interface

type
  TEditorForm = class(TForm)
  private
    procedure Load;
  end;

implementation

procedure TEditorForm.Load;
begin
end;

{ClassMarker_Method(TEditorForm)}

procedure Helper;
begin
end;

end.
