// XML tree, parser and writer: placeholder until the tree lands.
