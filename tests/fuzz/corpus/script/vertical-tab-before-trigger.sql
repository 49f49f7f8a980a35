
CREATE TRIGGER tr CRESrož²#CR TÄ;;;RU, R–––––;E;;;;;;;"REATE TRIG	