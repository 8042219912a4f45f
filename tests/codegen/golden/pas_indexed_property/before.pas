unit Margins;

interface

type
  TMargins = class(TPersistent)
  private
    FValues: array[0..3] of Integer;
  end;

implementation

end.
