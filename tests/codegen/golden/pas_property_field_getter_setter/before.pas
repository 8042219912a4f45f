unit Gauge;

interface

type
  TGauge = class(TGraphicControl)
  private
    FMin: Integer;
  published
    property Min: Integer read FMin write FMin;
  end;

implementation

end.
