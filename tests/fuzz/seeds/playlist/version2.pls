[playlist]
File2=/music/b.mp3
Title2=B
Length2=-1
File1=C:\Music\a.wav
NumberOfEntries=2
Version=2
