' Lets the simulated handset answer: each text message that is sent to it comes back with a few words, from the number
' that it went to. It runs until it is ended.
'
'   cscript //nologo answering_phone.vbs
Option Explicit

Dim handset, answered, waited
Set handset = CreateObject("DVMWorker.Handset")
handset.Plug
answered = handset.SentCount
If handset.StoredCount(2) = 0 Then
  handset.Deliver "+46735556677", "Hello! Are you coming on Sunday?", Stamp()
End If
Do
  WScript.Sleep 1000
  If handset.SentCount < answered Then answered = 0
  If handset.SentCount > answered Then
    WScript.Sleep 3000
    handset.Deliver handset.SentDestination(answered), AnswerTo(handset.SentText(answered)), Stamp()
    answered = answered + 1
  End If
Loop

Function AnswerTo(text)
  If InStr(text, "?") > 0 Then
    AnswerTo = "Yes, of course. You wrote: " & Left(text, 60)
  Else
    AnswerTo = "Thank you! You wrote: " & Left(text, 60)
  End If
End Function

Function Stamp()
  Dim t
  t = Now
  Stamp = Two(Year(t) Mod 100) & Two(Month(t)) & Two(Day(t)) & Two(Hour(t)) & Two(Minute(t)) & Two(Second(t))
End Function

Function Two(n)
  Two = Right("0" & n, 2)
End Function
