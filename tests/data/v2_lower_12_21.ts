! Any case, arguments on the next lines, the symmetric half alone
[VERSION] 2.0
# ghz s ma r 50
[number of ports]
2
[two-port data order]
12_21
[NUMBER OF FREQUENCIES] 3
[reference]
50
50.0
[matrix format] lower
[network data]
0.1 0.1 10  0.9 -20  0.2 30
0.2 0.1 12
    0.8 -40
    0.2 32
0.3 0.1 14  0.7 -60  0.2 34
[end]
