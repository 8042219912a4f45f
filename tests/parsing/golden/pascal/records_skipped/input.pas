unit Geometry;

interface

type
  TPoint3 = record
    X, Y, Z: Double;
  end;

  TVariant = packed record
    case Kind: Byte of
      0: (I: Integer);
      1: (D: Double);
      2: (P: record
            Lo, Hi: Word;
          end);
  end;

  TShape = class
  private
    FOrigin: TPoint3;
    FBounds: record
      Left, Top: Integer;
      Inner: record
        A: Byte;
      end;
    end;
    FPacked: packed record
      B: Byte;
    end;
    FCorners: array[0..3] of record X, Y: Integer; end;
    FKind: (skNone, skRect, skEllipse);
  public
    function Origin: TPoint3;
  end;

function Distance(const A, B: TPoint3): Double;

implementation

end.
