unit Marked;

interface

type
  TEditorForm = class(TForm)
  private
    procedure Load;
        procedure Save(const FileName: string);
  end;

implementation

procedure TEditorForm.Load;
begin
end;

@^procedure TEditorForm.Save(const FileName: string);
begin

end;

{ClassMarker_Method(TEditorForm)}

procedure Helper;
begin
end;

end.
