unit Margins;

interface

type
  TMargins = class(TPersistent)
  private
    FValues: array[0..3] of Integer;
        function GetLeft(__index: integer): Integer;
        procedure SetLeft(__index: integer; Value: Integer);
      public
        property Left: Integer read GetLeft write SetLeft index 0;
  end;

implementation

function TMargins.GetLeft(__index: integer): Integer;
begin
    result := FValues[__index];
end;

@^procedure TMargins.SetLeft(__index: integer; Value: Integer);
begin
    if (FValues[__index] <> Value) then begin
        FValues[__index] := Value;
    end;
end;

end.
