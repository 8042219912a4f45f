unit Nodes;

interface

type
  TNode = class;
  TNodeClass = class of TNode;
  INodeVisitor = interface;

  TNodeList = class(TList)
  public
    function First: TNode;
  end;

  TNode = class(TPersistent)
  private
    FChildren: TNodeList;
    FNodeClass: TNodeClass;
  public
    procedure Accept(const Visitor: INodeVisitor); virtual;
  end;

  TLeaf = class(TNode);
  TBranch = class(TNode)
  end;

  INodeVisitor = interface
    procedure Visit(Node: TNode);
  end;

implementation

end.
