(defun tessara_einfuege(pfad x y winkel lay0 atted expl ary)

  (setvar"cmdecho" 1)

  (command"._insert" pfad pause)

  (if x
    (command x)
    (command pause)
  );Ende if

  (if y
    (command y)
    (command pause)
  );Ende if

  (if winkel
    (command Winkel)
    (command pause)
  );Ende if
           
  (if lay0
    (command "._change" (entlast) "_prop" "_la" "0")
  );Ende if

  (if atted
    (command "._attedit" (entlast))
  );Ende if

  (if expl
    (command "._explode" (entlast))
  );Ende if

  (if ary
    (command "._array" (entlast))
  );Ende if

);Ende defun
