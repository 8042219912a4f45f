unit Dialogs2;

interface

type
  TInputDialog = class(TForm)
  public
    procedure Show;
        function Execute(const Msg: string; var Count: Integer): Boolean; override;
  end;

implementation

procedure TInputDialog.Show;
begin
end;

@^function TInputDialog.Execute(const Msg: string; var Count: Integer): Boolean;
begin
result :=     inherited Execute(Msg, Count);
end;

end.
