x
