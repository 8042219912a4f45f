unit Gauge;

interface

type
  TGauge = class(TGraphicControl)
  private
    FMin: Integer;
        FMax: Integer;
        function GetMax: Integer;
        procedure SetMax(Value: Integer);
  published
    property Min: Integer read FMin write FMin;
        property Max: Integer read GetMax write SetMax;
  end;

implementation

function TGauge.GetMax: Integer;
begin
    result := FMax;
end;

@^procedure TGauge.SetMax(Value: Integer);
begin
    if (FMax <> Value) then begin
        FMax := Value;
    end;
end;

end.
