unit Config;

{$I defs.inc}

interface

{$INCLUDE 'platform.inc'}
{$i DEFS.INC}
{$I+}
{$IFDEF DEBUG}
{$INCLUDE debug.inc}
{$ENDIF}

type
  TConfig = class
  {$I members.inc}
    FName: string;
  end;

implementation

{$I impl.inc}

end.
